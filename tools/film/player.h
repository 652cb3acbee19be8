// Plays the show frame by frame, each at its exact time, however long it takes to draw.
#pragma once

#include "am_image.h"
#include "kin_main.h"

namespace zentrak::film {

// Frame n is the picture at n / rate seconds. No sound is played and no settings are saved.
class Player : public kindler::Kindler {
public:
    explicit Player(int rate); // frames a second
    ~Player() override;

    // Opens the window and loads the added effects; call setup() and addCallback() first. A width or height
    // of 0 means that of the setup file.
    void open(int width, int height);

    int getWidth() const { return mSize[0]; }
    int getHeight() const { return mSize[1]; }

    // Plays the next frame, starting at 0. With `seen` false it does everything but draw pixels. Returns
    // false if the viewer has closed the window or pressed Esc.
    bool playFrame(bool seen);

    long getNextFrame() const { return mNext; } // the frame that playFrame() will play

    // The picture of the last frame played, if it was seen. The player owns it and overwrites it in the next
    // call.
    am::Image& grab();

    int onKeyDown(const display::KeyEvent& event) override;
    void onDraw() override;

private:
    int mRate;
    int mSize[2] = {0, 0};
    long mNext = 0;
    bool mSeen = true;
    am::Image mPicture;
};

} // namespace zentrak::film
