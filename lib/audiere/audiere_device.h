// An OpenAL device and the one context that its streams use.
#pragma once

#include "audiere.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>
#include <string>

namespace zentrak::audiere {

class OpenALDevice : public AudioDevice {
public:
    // `name` null means the default device. Null if there is no such device or it provides no context.
    static RefPtr<OpenALDevice> open(const char* name);

    // Makes the context current on the calling thread; required before any OpenAL call for this device.
    void makeCurrent();
    // Call before the thread or the device ends.
    void releaseCurrent();

    // False once the device has been unplugged, or its sound server has ended. It stays so.
    virtual bool isConnected();
    // The device of the same name as it is now, or null. On any thread; may take as long as the sound server.
    virtual RefPtr<OpenALDevice> reopen() const;

protected:
    OpenALDevice(ALCdevice* device, ALCcontext* context, const char* name); // takes ownership of both
    ~OpenALDevice() override;

private:
    ALCdevice* mDevice;
    ALCcontext* mContext;
    std::string mName; // empty for the default
};

} // namespace zentrak::audiere
