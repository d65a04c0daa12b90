#pragma once
// Giving back a reference of the decoder library exactly once.

// Releases the object, if any, and forgets it.
template <typename Interface>
void twReleaseAndNull(Interface*& object) {
    if (object) {
        object->Release();
        object = nullptr;
    }
}
