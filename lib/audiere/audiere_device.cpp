#include "audiere_device.h"

namespace zentrak::audiere {

namespace {

// Each thread has its own current context: ALC_EXT_thread_local_context, which OpenAL Soft always has.
PFNALCSETTHREADCONTEXTPROC setThreadContext() {
    static const auto set =
        reinterpret_cast<PFNALCSETTHREADCONTEXTPROC>(alcGetProcAddress(nullptr, "alcSetThreadContext"));
    return set;
}

thread_local ALCcontext* current = nullptr;

} // namespace

RefPtr<OpenALDevice> OpenALDevice::open(const char* name) {
    ALCdevice* const device = setThreadContext() ? alcOpenDevice(name) : nullptr;
    if (!device)
        return nullptr;
    ALCcontext* const context = alcCreateContext(device, nullptr);
    if (!context) {
        alcCloseDevice(device);
        return nullptr;
    }
    return new OpenALDevice(device, context, name);
}

OpenALDevice::OpenALDevice(ALCdevice* device, ALCcontext* context, const char* name)
    : mDevice(device), mContext(context), mName(name ? name : "") {}

RefPtr<OpenALDevice> OpenALDevice::reopen() const {
    return open(mName.empty() ? nullptr : mName.c_str());
}

OpenALDevice::~OpenALDevice() {
    releaseCurrent();
    alcDestroyContext(mContext);
    alcCloseDevice(mDevice);
}

void OpenALDevice::makeCurrent() {
    if (current == mContext)
        return;
    setThreadContext()(mContext);
    current = mContext;
}

void OpenALDevice::releaseCurrent() {
    if (current != mContext)
        return;
    setThreadContext()(nullptr);
    current = nullptr;
}

bool OpenALDevice::isConnected() {
    ALCint connected = ALC_TRUE;
    if (alcIsExtensionPresent(mDevice, "ALC_EXT_disconnect"))
        alcGetIntegerv(mDevice, ALC_CONNECTED, 1, &connected);
    return connected != ALC_FALSE;
}

} // namespace zentrak::audiere
