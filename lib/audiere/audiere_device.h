// An OpenAL device with the one context in which its streams live.
#pragma once

#include "audiere.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

namespace zentrak::audiere {

class OpenALDevice : public AudioDevice {
public:
    // Null when there is no device of this name (null: the system's own), or it gives no context.
    static RefPtr<OpenALDevice> open(const char* name);

    // Makes the context the calling thread's; before any OpenAL call on behalf of this device.
    void makeCurrent();
    // Before the thread ends, or the device.
    void releaseCurrent();

    // False once the device was unplugged.
    virtual bool isConnected();

protected:
    OpenALDevice(ALCdevice* device, ALCcontext* context); // takes ownership of both
    ~OpenALDevice() override;

private:
    ALCdevice* mDevice;
    ALCcontext* mContext;
};

} // namespace zentrak::audiere
