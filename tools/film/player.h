// The show frame by frame, each at its exact time, however long it takes to draw.
#pragma once

#include "am_image.h"
#include "kin_main.h"

namespace zentrak::film {

// Frame n is the picture at n / rate seconds. Sound is not played, and settings are not saved.
class Player : public kindler::Kindler {
public:
    explicit Player(int rate); // frames a second
    ~Player() override;

    // Opens the window and loads the effects that have been added; setup() and addCallback() come before. A
    // width or height of 0 is that of the setup file.
    void open(int width, int height);

    int getWidth() const { return mSize[0]; }
    int getHeight() const { return mSize[1]; }

    // Plays the next frame, from 0 on. An unseen one goes through all motions but draws no pixel. False if
    // the viewer has closed the window or pressed Esc.
    bool playFrame(bool seen);

    long getNextFrame() const { return mNext; } // the number of the frame that playFrame() will play

    // The picture of the frame played last, if it was seen. It belongs to the player and is overwritten by
    // the next call.
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
