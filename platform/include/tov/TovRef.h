/// @file
/// A smart reference to a component.
#pragma once

#include <utility>

namespace tov {

/// Owns one reference of an object, or none. As safe for threads as a plain pointer.
template <typename T>
class TovRef {
public:
    /// No object.
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

    /// Takes a reference of its own on the same object.
    TovRef(const TovRef& other) : TovRef(other.mObject) {}
    /// Takes the other's reference over and leaves it empty.
    TovRef(TovRef&& other) noexcept : mObject(other.detach()) {}
    /// Gives the present reference back and takes the other's.
    TovRef& operator=(TovRef other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }
    /// Gives the reference back.
    ~TovRef() { reset(); }

    /// The object, or null; the reference stays here.
    T* get() const { return mObject; }
    /// @{

    /// The object. There has to be one.
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    /// @}
    /// Whether there is an object.
    explicit operator bool() const { return mObject != nullptr; }

    /// Hands the reference to the caller, without giving it back.
    T* detach() { return std::exchange(mObject, nullptr); }

    /// Gives the reference back, if there is one.
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
