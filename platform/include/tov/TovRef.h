// A smart reference to a component.
#pragma once

#include <utility>

namespace tov {

/// Owns one reference of an object, or none. As safe for threads as a plain pointer.
template <typename T>
class TovRef {
public:
    TovRef() = default;

    /// Takes a reference of its own.
    explicit TovRef(T* object) : mObject(object) {
        if (mObject != nullptr) {
            mObject->addRef();
        }
    }

    /// Takes over a reference that the caller owned.
    static TovRef adopt(T* object) {
        TovRef ref;
        ref.mObject = object;
        return ref;
    }

    TovRef(const TovRef& other) : TovRef(other.mObject) {}
    TovRef(TovRef&& other) noexcept : mObject(other.detach()) {}
    TovRef& operator=(TovRef other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }
    ~TovRef() { reset(); }

    T* get() const { return mObject; }
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    explicit operator bool() const { return mObject != nullptr; }

    /// Hands the reference to the caller, without giving it back.
    T* detach() { return std::exchange(mObject, nullptr); }

    void reset() {
        // Emptied first: the release may lead back here.
        if (T* object = detach()) {
            object->release();
        }
    }

    /// Where a method may store an object together with a reference; what was held is given back first.
    T** receive() {
        reset();
        return &mObject;
    }

private:
    T* mObject = nullptr;
};

} // namespace tov
