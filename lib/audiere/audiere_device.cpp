#include "audiere_device.h"

namespace zentrak::audiere {

RefPtr<OpenALDevice> OpenALDevice::adopt(ALCdevice* device, const ALCint* attributes) {
    if (!device)
        return nullptr;
    ALCcontext* context = alcCreateContext(device, attributes);
    if (!context) {
        alcCloseDevice(device);
        return nullptr;
    }
    return new OpenALDevice(device, context);
}

OpenALDevice::OpenALDevice(ALCdevice* device, ALCcontext* context) : mDevice(device), mContext(context) {}

OpenALDevice::~OpenALDevice() {
    if (alcGetCurrentContext() == mContext)
        alcMakeContextCurrent(nullptr);
    alcDestroyContext(mContext);
    alcCloseDevice(mDevice);
}

void OpenALDevice::makeCurrent() {
    if (alcGetCurrentContext() != mContext)
        alcMakeContextCurrent(mContext);
}

bool OpenALDevice::isConnected() {
    ALCint connected = ALC_TRUE;
    if (alcIsExtensionPresent(mDevice, "ALC_EXT_disconnect"))
        alcGetIntegerv(mDevice, ALC_CONNECTED, 1, &connected);
    return connected != ALC_FALSE;
}

} // namespace zentrak::audiere
