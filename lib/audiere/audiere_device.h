// An OpenAL device with the one context in which its streams live.
#pragma once

#include "audiere.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

namespace zentrak::audiere {

class OpenALDevice : public AudioDevice {
public:
    // Takes over an open device; `attributes` are those of its context and may be null. Null, and the device
    // closed, when the device is null or gives no context.
    static RefPtr<OpenALDevice> adopt(ALCdevice* device, const ALCint* attributes);

    // To be called before any call of OpenAL on behalf of this device.
    void makeCurrent();

    // False once the device was unplugged.
    virtual bool isConnected();

protected:
    OpenALDevice(ALCdevice* device, ALCcontext* context); // takes over both
    ~OpenALDevice() override;

private:
    ALCdevice* mDevice;
    ALCcontext* mContext;
};

} // namespace zentrak::audiere
