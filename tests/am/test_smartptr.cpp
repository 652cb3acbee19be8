#include "am_testing.h"

#include <utility>

using namespace zentrak::test;
using zentrak::am::File;
using zentrak::am::FileStructure;
using zentrak::am::TRefCount;
using zentrak::am::TSmartPtr;

namespace {

// Counts its live instances.
struct Tracked {
    static inline int live = 0;
    Tracked() { ++live; }
    ~Tracked() { --live; }
};
using TrackedPtr = TSmartPtr<Tracked, TRefCount<Tracked>>;

} // namespace

TEST(SmartPtr, StartsEmpty) {
    TrackedPtr pointer;
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(pointer.getObject(), nullptr);
    EXPECT_EQ(pointer.getRefCount(), 0u);
    pointer.addRef();
    pointer.release();
    EXPECT_TRUE(pointer.isNull());
}

TEST(SmartPtr, IsOneFieldAndItsCountTooIsOne) {
    EXPECT_EQ(sizeof(TrackedPtr), sizeof(void*));
    EXPECT_EQ(sizeof(TRefCount<Tracked>), sizeof(unsigned long));
}

TEST(SmartPtr, TheLastPointerDeletesTheObject) {
    TrackedPtr first(new Tracked());
    EXPECT_EQ(first.getRefCount(), 1u);
    {
        TrackedPtr second(first), third;
        third = second;
        EXPECT_EQ(first.getRefCount(), 3u);
        EXPECT_EQ(third.getObject(), first.getObject());
    }
    EXPECT_EQ(first.getRefCount(), 1u);
    EXPECT_EQ(Tracked::live, 1);
    first.release();
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(Tracked::live, 0);
}

TEST(SmartPtr, AssignedToItselfKeepsItsObject) {
    TrackedPtr pointer(new Tracked());
    TrackedPtr& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer.getRefCount(), 1u);
    EXPECT_EQ(Tracked::live, 1);
    pointer = std::move(same);
    EXPECT_EQ(pointer.getRefCount(), 1u);
    EXPECT_EQ(Tracked::live, 1);
}

TEST(SmartPtr, AttachReleasesWhatWasHeld) {
    TrackedPtr pointer(new Tracked());
    pointer.attach(new Tracked());
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(pointer.getRefCount(), 1u);
    pointer.attach(pointer.getObject());
    EXPECT_EQ(Tracked::live, 1);
    pointer.attach(nullptr);
    EXPECT_TRUE(pointer.isNull());
    EXPECT_EQ(Tracked::live, 0);
}

TEST(SmartPtr, AttachingAHeldObjectMakesAnIndependentCount) {
    static int deletions;
    struct Static {
        static void operator delete(void*) { ++deletions; } // the object is not on the heap
    };
    deletions = 0;
    static Static object;
    {
        TSmartPtr<Static> first(&object), second(&object), copy(second);
        EXPECT_EQ(first.getRefCount(), 1u);
        EXPECT_EQ(second.getRefCount(), 2u);
    }
    EXPECT_EQ(deletions, 2);
}

TEST(SmartPtr, AddRefKeepsTheObjectBeyondTheLastPointer) {
    struct Static {
        static void operator delete(void*) { ADD_FAILURE() << "deleted"; }
    };
    static Static object;
    static const auto* keeper =
        new TSmartPtr<Static>(&object); // reachable until exit, like its control block
    TSmartPtr<Static> pointer(*keeper);
    pointer.addRef();
    EXPECT_EQ(keeper->getRefCount(), 3u);
    pointer.release();
    EXPECT_EQ(keeper->getRefCount(), 2u);
}

TEST(SmartPtr, DereferencingAnEmptyPointerThrows) {
    File empty;
    const File& constant = empty;
    const char text[] = "TSmartPtr::operator->() - Attempt to dereference (NULL)object!";
    EXPECT_EQ(thrownBy([&] { empty->length = 1; }), text);
    EXPECT_EQ(thrownBy([&] { (void)constant->length; }), text);
    EXPECT_EQ(thrownBy([&] { (void)*empty; }), text);
}

TEST(FileStructure, CopiesTheBytesItIsMadeOf) {
    std::string bytes("a\0b", 3);
    FileStructure file("name", bytes.data(), 3);
    EXPECT_EQ(file.filename, "name");
    EXPECT_EQ(file.length, 3);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(file.data), 3), bytes);
    FileStructure none("none", nullptr, 0);
    EXPECT_EQ(none.length, 0);
    FileStructure negative("negative", nullptr, -1);
    EXPECT_EQ(negative.length, 0);
}
