#include "am_archivemanager.h"
#include "am_imagecodecpng.h"
#include "am_imagemanager.h"
#include "am_testing.h"

#include <memory>
#include <utility>

using namespace zentrak::test;
using zentrak::am::File;
using zentrak::am::Image;
using zentrak::am::ImageCodec;
using zentrak::am::ImageManager;
using zentrak::am::ImageObject;

namespace {

const char cAccess[] = "ImageObbject::getWriteData, Access not allowed!";

class Images : public ::testing::Test {
protected:
    ImageManager mManager;
    File mFile = makeFile("file", fixture("rgba.png"));
};

} // namespace

// ---- the object

TEST(ImageObject, StartsEmptyAndPrivate) {
    ImageObject object;
    EXPECT_EQ(object.getManager(), nullptr);
    EXPECT_EQ(object.getId(), "");
    EXPECT_EQ(object.getWidth(), 0);
    EXPECT_EQ(object.getHeight(), 0);
    EXPECT_EQ(object.getData(), nullptr);
    EXPECT_EQ(object.getWriteData(), nullptr);
}

TEST(ImageObject, ResizingGivesZeroedPixels) {
    ImageObject object;
    object.resize(3, 2);
    EXPECT_EQ(object.getWidth(), 3);
    EXPECT_EQ(object.getHeight(), 2);
    for (int i = 0; i < 3 * 2 * 4; ++i)
        EXPECT_EQ(object.getData()[i], 0);
    object.getWriteData()[23] = 1;
    object.resize(7, 5);
    EXPECT_EQ(object.getData()[7 * 5 * 4 - 1], 0);
}

TEST(ImageObject, WithASideOfZeroThereAreNoPixels) {
    ImageObject object;
    object.resize(3, 2);
    object.resize(3, 0);
    EXPECT_EQ(object.getWidth(), 3);
    EXPECT_EQ(object.getHeight(), 0);
    EXPECT_EQ(object.getData(), nullptr);
    object.resize(-1, 5);
    EXPECT_EQ(object.getWidth(), 0);
    EXPECT_EQ(object.getHeight(), 0);
    EXPECT_EQ(object.getData(), nullptr);
}

TEST(ImageObject, TakesOverTheArrayItIsGiven) {
    ImageObject object;
    auto* first = new unsigned char[8];
    object.setData(first, 2, 1);
    EXPECT_EQ(object.getData(), first);
    EXPECT_EQ(object.getWidth(), 2);
    auto* second = new unsigned char[8];
    object.setData(second);
    object.setData(second);
    EXPECT_EQ(object.getWriteData(), second);
    EXPECT_EQ(object.getWidth(), 2);
}

TEST(ImageObject, PixelsOfAManagedImageAreReadOnly) {
    ImageManager manager;
    ImageObject object;
    object.resize(1, 1);
    object.setManager(&manager);
    EXPECT_NE(object.getData(), nullptr);
    EXPECT_EQ(thrownBy([&] { object.getWriteData(); }), cAccess);
    object.setManager(nullptr);
    EXPECT_EQ(object.getWriteData(), object.getData());
}

// ---- the handle

TEST(Image, ANullImageThrowsWhenDereferenced) {
    Image image, null(nullptr);
    EXPECT_TRUE(image.isNull());
    EXPECT_TRUE(null.isNull());
    EXPECT_EQ(thrownBy([&] { image->getWidth(); }),
              "Image::operator->() - Attempt to dereference (NULL)ImageObject!");
    EXPECT_EQ(thrownBy([&] { (*image).getWidth(); }),
              "Image::operator*() Attempt to dereference (NULL)ImageObject!");
}

TEST(Image, IsOneField) {
    EXPECT_EQ(sizeof(Image), sizeof(void*));
}

TEST(Image, CopiesShareOneObject) {
    auto* object = new ImageObject();
    Image first(object), second(first), third;
    third = second;
    EXPECT_EQ(&*third, object);
    EXPECT_EQ(first.getRef(), 3);
    second.release();
    EXPECT_TRUE(second.isNull());
    third.assign(Image());
    EXPECT_TRUE(third.isNull());
    EXPECT_EQ(first.getRef(), 1);
    second.release(); // already released
    EXPECT_EQ(second.getRef(), 0);
}

TEST(Image, AssignedToItselfKeepsItsObject) {
    Image image(new ImageObject());
    Image& same = image;
    image = same;
    image.assign(same);
    image = std::move(same);
    image.assign(&*image);
    EXPECT_EQ(image.getRef(), 1);
    EXPECT_EQ(image->getWidth(), 0);
}

TEST(Image, MovesAndTakesOverObjects) {
    Image first(new ImageObject());
    Image second(std::move(first));
    EXPECT_EQ(second.getRef(), 1);
    second = Image(new ImageObject());
    second.assign(new ImageObject());
    second->resize(4, 4);
    Image third;
    third = std::move(second);
    EXPECT_EQ(third->getWidth(), 4);
    third.assign(nullptr);
    EXPECT_TRUE(third.isNull());
}

// ---- the cache

TEST_F(Images, SharedLoadsGiveOneObjectAndWritableLoadsTwo) {
    Image a = mManager.loadImage("a.png", mFile, false), b = mManager.loadImage("a.png", mFile, false);
    EXPECT_EQ(&*a, &*b);
    EXPECT_EQ(a.getRef(), 3); // including the cache's
    Image c = mManager.loadImage("a.png", mFile, true), d = mManager.loadImage("a.png", mFile, true);
    EXPECT_NE(&*c, &*d);
    EXPECT_NE(&*c, &*a);
    EXPECT_EQ(c.getRef(), 1);
    EXPECT_EQ(a->getManager(), &mManager);
    EXPECT_EQ(c->getManager(), nullptr);
    EXPECT_EQ(a->getId(), "a.png");
    EXPECT_EQ(c->getId(), "a.png");
}

TEST_F(Images, OnlyAPrivateImageGivesItsPixelsForWriting) {
    Image shared = mManager.loadImage("a.png", mFile, false), mine = mManager.loadImage("a.png", mFile, true);
    EXPECT_EQ(thrownBy([&] { shared->getWriteData(); }), cAccess);
    ASSERT_NE(mine->getWriteData(), nullptr);
    mine->getWriteData()[0] = 17;
    EXPECT_EQ(mine->getData()[0], 17);
}

TEST_F(Images, DroppingBothHandlesEmptiesTheCache) {
    Image a = mManager.loadImage("a.png", mFile, false), b = mManager.loadImage("a.png", mFile, false);
    a.release();
    EXPECT_FALSE(mManager.getImage("a.png").isNull());
    b.release();
    EXPECT_TRUE(mManager.getImage("a.png").isNull());
    EXPECT_EQ(thrownBy([&] { mManager.removeImage("a.png"); }),
              "ImageManager::removeImage, Image a.png not found!");
}

TEST_F(Images, AskingTheCacheDoesNotKeepTheImage) {
    EXPECT_TRUE(mManager.getImage("a.png").isNull());
    Image a = mManager.loadImage("a.png", mFile, false);
    {
        Image asked = mManager.getImage("a.png");
        EXPECT_EQ(&*asked, &*a);
    }
    EXPECT_EQ(a.getRef(), 2);
}

TEST_F(Images, ACachedImageIsReturnedWithoutLookingAtTheFile) {
    Image a = mManager.loadImage("a.png", mFile, false);
    Image b = mManager.loadImage("a.png", makeFile("broken", "no picture"), false);
    EXPECT_EQ(&*a, &*b);
}

TEST_F(Images, TheNameIsTheKeyLetterForLetter) {
    Image a = mManager.loadImage("a.png", mFile, false), b = mManager.loadImage("./a.png", mFile, false);
    EXPECT_NE(&*a, &*b);
}

TEST_F(Images, TheExtensionIsLowered) {
    EXPECT_EQ(mManager.loadImage("photo.PNG", mFile, true)->getWidth(), cFixtureWidth);
    EXPECT_EQ(mManager.loadImage("a.b/photo.pNg", mFile, true)->getWidth(), cFixtureWidth);
    EXPECT_EQ(mManager.loadImage("photo.JPG", makeFile("x", fixture("baseline.jpg")), true)->getWidth(),
              cFixtureWidth);
}

TEST_F(Images, WithoutACodecTheDecoderTextIsThrown) {
    for (const char* name : {"photo.jpeg", "photo", "png", "photo.", "", "photo.png/x", "photo.png "})
        EXPECT_EQ(thrownBy([&] { mManager.loadImage(name, mFile, false); }),
                  std::string("ImageManager::loadImage, No decoder found for ") + name);
}

TEST_F(Images, TheExtensionFollowsTheLastDot) {
    EXPECT_EQ(mManager.getExtension("a.b.PNG"), "PNG");
    EXPECT_EQ(mManager.getExtension("a."), "");
    EXPECT_EQ(mManager.getExtension("a"), "");
    EXPECT_EQ(mManager.getExtension(".png"), "png");
    EXPECT_EQ(mManager.getExtension("a.b/c"), "b/c");
}

TEST_F(Images, CodecsAreFoundByLowerCaseExtension) {
    for (const char* extension : {"png", "jpg", "tga"}) {
        ImageCodec* codec = mManager.getCodec(extension);
        ASSERT_NE(codec, nullptr) << extension;
        EXPECT_EQ(codec->getFormatString(), extension);
        EXPECT_EQ(codec->canWrite(), std::string(extension) == "png");
    }
    for (const char* extension : {"PNG", "jpeg", "bmp", ""})
        EXPECT_EQ(mManager.getCodec(extension), nullptr) << extension;
}

TEST_F(Images, AFailureOfTheCodecLeavesNothingBehind) {
    EXPECT_EQ(thrownBy([&] { mManager.loadImage("a.png", makeFile("x", "short"), false); }),
              "[loadPNG] Not a png-file! Header is wrong!");
    EXPECT_TRUE(mManager.getImage("a.png").isNull());
    EXPECT_EQ(thrownBy([&] { mManager.loadImage("a.tga", mFile, false); }),
              "[ImageCodec] TGA-reader is not done yet!");
}

TEST_F(Images, AnEmptyPointerIsAFileWithoutBytes) {
    EXPECT_EQ(thrownBy([&] { mManager.loadImage("a.png", File(), false); }),
              "[loadPNG] Not a png-file! Header is wrong!");
    EXPECT_EQ(thrownBy([&] { mManager.loadImage("a.jpg", File(), false); }),
              "Internal jpeglib error; Premature end of JPEG file");
}

TEST_F(Images, EmptyingTheCacheLeavesImagesInUseAsPrivateOnes) {
    Image a = mManager.loadImage("a.png", mFile, false), b = a;
    mManager.empty();
    EXPECT_TRUE(mManager.getImage("a.png").isNull());
    EXPECT_EQ(a.getRef(), 2);
    EXPECT_NE(a->getWriteData(), nullptr);
    b.release();
    EXPECT_EQ(a.getRef(), 1);
    EXPECT_NE(&*a, &*mManager.loadImage("a.png", mFile, false));
}

TEST_F(Images, AnImageOutlivesItsManager) {
    Image a;
    {
        ImageManager other;
        a = other.loadImage("a.png", mFile, false);
    }
    EXPECT_EQ(a.getRef(), 1);
    EXPECT_EQ(pixel(*a, 2, 3), fixturePixel(2, 3, true));
    a->getWriteData()[0] = 1;
}

TEST_F(Images, RemovingAnImageInUseLeavesItAsAPrivateOne) {
    Image a = mManager.loadImage("a.png", mFile, false), b = a;
    EXPECT_EQ(mManager.removeImage("a.png"), 1);
    EXPECT_TRUE(mManager.getImage("a.png").isNull());
    Image again = mManager.loadImage("a.png", mFile, false);
    b.release();
    a.release(); // not the one that is in the cache now
    EXPECT_EQ(&*mManager.getImage("a.png"), &*again);
}

TEST_F(Images, RemovingAMissingImageThrows) {
    EXPECT_EQ(thrownBy([&] { mManager.removeImage("no%sne"); }).substr(0, 37),
              std::string("ImageManager::removeImage, Image no%sne not found!").substr(0, 37));
    EXPECT_EQ(thrownBy([&] { mManager.removeImage("none"); }),
              "ImageManager::removeImage, Image none not found!");
}

// An image whose manager or name was changed by hand is in no cache: dropping it must not end the program.
TEST_F(Images, AForgedImageIsStillDropped) {
    Image forged(new ImageObject()), copy(forged);
    forged->setId("forged");
    forged->setManager(&mManager);
    EXPECT_EQ(thrownBy([&] { forged.release(); }), "ImageManager::removeImage, Image forged not found!");
    EXPECT_TRUE(forged.isNull());
    EXPECT_EQ(copy.getRef(), 1);

    Image renamed = mManager.loadImage("a.png", mFile, false);
    renamed->setId("b.png");
    { Image last(std::move(renamed)); }
    EXPECT_EQ(mManager.getImage("a.png").getRef(), 2); // still the cache's
}

TEST_F(Images, EncodingNamesTheFile) {
    Image image = mManager.loadImage("a.png", mFile, true);
    File file = mManager.encodeImage("out/b.PNG", image);
    ASSERT_FALSE(file.isNull());
    EXPECT_EQ(file->filename, "out/b.PNG");
    EXPECT_EQ(file.getRefCount(), 1u);
    Image back = mManager.loadImage("c.png", file, true);
    EXPECT_EQ(pixel(*back, 32, 16), fixturePixel(32, 16, true));
}

TEST_F(Images, EncodingWithoutAWriterGivesNoFile) {
    Image image = mManager.loadImage("a.png", mFile, true), null;
    for (const char* name : {"a.jpg", "a.tga", "a.bmp", "a", ""}) {
        EXPECT_TRUE(mManager.encodeImage(name, image).isNull()) << name;
        EXPECT_TRUE(mManager.encodeImage(name, null).isNull()) << name;
    }
}

TEST_F(Images, EncodingACachedOrANullImageThrows) {
    Image shared = mManager.loadImage("a.png", mFile, false), null;
    EXPECT_EQ(thrownBy([&] { mManager.encodeImage("b.png", shared); }), cAccess);
    EXPECT_EQ(thrownBy([&] { mManager.encodeImage("b.png", null); }),
              "Image::operator*() Attempt to dereference (NULL)ImageObject!");
}
