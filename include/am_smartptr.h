// A counted pointer whose count is separate from the object.
#pragma once

#include <memory>
#include <utility>

namespace zentrak::am {

// Throws "TSmartPtr::operator->() - Attempt to dereference (NULL)object!".
[[noreturn]] void throwNullSmartPtr();

// The count of one object. Not atomic: one thread only.
template <class T>
class TRefCount {
public:
    unsigned long addRef() { return ++mRefCount; }
    unsigned long decRef() { return --mRefCount; }
    unsigned long getRefCount() const { return mRefCount; }

private:
    unsigned long mRefCount = 1;
};

// Shares one object on the heap; the last pointer to be destroyed deletes it.
template <class T, class Count = TRefCount<T>>
class TSmartPtr {
public:
    TSmartPtr() = default;
    explicit TSmartPtr(const T* object) { attach(object); }
    TSmartPtr(const TSmartPtr& other) : mBlock(other.mBlock) { addRef(); }
    TSmartPtr(TSmartPtr&& other) noexcept : mBlock(std::exchange(other.mBlock, nullptr)) {}
    ~TSmartPtr() { release(); }

    TSmartPtr& operator=(const TSmartPtr& other) {
        TSmartPtr copy(other); // counts first, so that a pointer assigned to itself keeps its object
        std::swap(mBlock, copy.mBlock);
        return *this;
    }
    TSmartPtr& operator=(TSmartPtr&& other) noexcept {
        TSmartPtr taken(std::move(other));
        std::swap(mBlock, taken.mBlock);
        return *this;
    }

    // Lets go of what is held and takes `object`, made with `new`, with a count of 1; null makes the pointer
    // empty. An object that another pointer already holds gets a second count, independent of the first: the
    // caller must ensure that only one of them deletes it. Assigning the object already held here keeps it.
    void attach(const T* object) {
        if (object && object == getObject())
            return;
        release();
        if (!object)
            return;
        std::unique_ptr<T> guard(const_cast<T*>(object));
        mBlock = new Block{guard.get(), {}};
        guard.release();
    }

    // Makes the pointer empty; the last one deletes the object.
    void release() {
        Block* block = std::exchange(mBlock, nullptr);
        if (block && block->mCount.decRef() == 0)
            destroy(block);
    }

    // Adds a reference that the caller has to drop again; nothing for an empty pointer.
    void addRef() {
        if (mBlock)
            mBlock->mCount.addRef();
    }

    unsigned long getRefCount() const { return mBlock ? mBlock->mCount.getRefCount() : 0; } // 0 when empty
    bool isNull() const { return !mBlock; }
    const T* getObject() const { return mBlock ? mBlock->mObject : nullptr; } // null when empty
    T* getObject() { return mBlock ? mBlock->mObject : nullptr; }

    // The object; an empty pointer throws zentrak::Exception (see throwNullSmartPtr).
    const T* operator->() const { return held(); }
    T* operator->() { return held(); }
    const T& operator*() const { return *held(); }
    T& operator*() { return *held(); }

    explicit operator bool() const { return mBlock != nullptr; }

private:
    struct Block {
        T* mObject;
        Count mCount;
    };

    // Out of line: inlined everywhere, it makes the compiler see uses after the deletion that the count
    // rules out.
    [[gnu::noinline]] static void destroy(Block* block) {
        delete block->mObject;
        delete block;
    }

    T* held() const {
        if (!mBlock)
            throwNullSmartPtr();
        return mBlock->mObject;
    }

    Block* mBlock = nullptr;
};

} // namespace zentrak::am
