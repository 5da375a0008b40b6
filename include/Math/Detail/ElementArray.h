#pragma once

/// @file
/// The growable storage that all containers share. Not an interface for callers.

#include <Math/Detail/RecyclingAllocator.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Tervane::Math::Detail {

/// Asks for storage whose elements are about to be written by the caller.
struct Uninitialised {};

/// A growable array of plain numbers.
///
/// std::vector differs in four things: it writes every element of new storage even where the next loop writes
/// them again, it assigns into exactly the space needed where ours grows by one and a half (compatibility
/// C19), its limit is half of ours, 2^60 - 1 doubles, and its length error has another text (compatibility
/// C20).
///
/// Lengths are checked before anything is allocated. After a failed allocation the array is as it was.
template<class T, class Allocator>
class ElementArray {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved and copied as blocks of memory");

public:
    /// The largest count whose size in bytes fits in 64 bits.
    static constexpr std::size_t maxLength = std::numeric_limits<std::size_t>::max() / sizeof(T);

    ElementArray() noexcept = default;

    /// `n` elements for the caller to write.
    ElementArray(Uninitialised, std::size_t n) : _begin(allocate(n)), _end(_begin + n), _capacityEnd(_end) {}

    /// `n` zeros, cleared in one sweep.
    explicit ElementArray(std::size_t n) : ElementArray(Uninitialised{}, n) { fillNew(_begin, _end, T()); }

    ElementArray(std::size_t n, T const& value) : ElementArray(Uninitialised{}, n) {
        fillNew(_begin, _end, value);
    }

    /// A copy of the `n` elements at `source`.
    ElementArray(T const* source, std::size_t n) : ElementArray(Uninitialised{}, n) {
        copy(source, n, _begin);
    }

    /// The copy's capacity is the length, whatever the source's is.
    ElementArray(ElementArray const& other) : ElementArray(other._begin, other.length()) {}

    ElementArray(ElementArray&& other) noexcept { swap(other); }

    /// Reuses this array's storage when it suffices; otherwise the new storage has room for the larger of the
    /// new length and one and a half times the old capacity.
    ElementArray& operator=(ElementArray const& other) {
        if (this != &other)
            assign(other._begin, other.length());
        return *this;
    }

    ElementArray& operator=(ElementArray&& other) noexcept {
        if (this != &other) {
            ElementArray taken(std::move(other));
            swap(taken);
        }
        return *this;
    }

    /// Most arrays that die have been moved from; asking here saves those the call.
    ~ElementArray() {
        if (_begin != nullptr)
            Allocator().deallocate(_begin, capacity());
    }

    void swap(ElementArray& other) noexcept {
        std::swap(_begin, other._begin);
        std::swap(_end, other._end);
        std::swap(_capacityEnd, other._capacityEnd);
    }

    std::size_t length() const noexcept { return static_cast<std::size_t>(_end - _begin); }
    std::size_t capacity() const noexcept { return static_cast<std::size_t>(_capacityEnd - _begin); }

    /// Null when nothing was ever allocated.
    T* data() noexcept { return _begin; }
    T const* data() const noexcept { return _begin; }

    T* begin() noexcept { return _begin; }
    T const* begin() const noexcept { return _begin; }
    T* end() noexcept { return _end; }
    T const* end() const noexcept { return _end; }

    T& operator[](std::size_t i) noexcept { return _begin[i]; }
    T const& operator[](std::size_t i) const noexcept { return _begin[i]; }

    /// Makes room for exactly `n` elements when there is less; keeps the elements.
    void reserve(std::size_t n) {
        if (n > capacity())
            reallocate(n);
    }

    /// Drops the tail, keeping the capacity, or appends copies of `value`, which may be an element of this
    /// array.
    void resize(std::size_t n, T const& value = T()) {
        std::size_t const old = length();
        if (n > old) {
            T const fill = value; // the reallocation would leave a reference to an element dangling
            if (n > capacity())
                reallocate(grownCapacity(n));
            fillNew(_begin + old, _begin + n, fill);
        }
        _end = _begin + n;
    }

    /// Replaces the elements by the `n` at `source`, which may lie in this array's own storage.
    void assign(T const* source, std::size_t n) {
        if (n > capacity()) {
            ElementArray grown;
            grown.reserve(grownCapacity(n));
            grown.assign(source, n);
            swap(grown);
        } else {
            if (n != 0)
                std::memmove(static_cast<void*>(_begin), source, n * sizeof(T));
            _end = _begin + n;
        }
    }

private:
    static T* allocate(std::size_t n) {
        if (n > maxLength)
            throw std::length_error("vector too long");
        return n == 0 ? nullptr : Allocator().allocate(n);
    }

    static void copy(T const* source, std::size_t n, T* destination) noexcept {
        if (n != 0)
            std::memcpy(static_cast<void*>(destination), source, n * sizeof(T));
    }

    /// Positive zero is all bits clear, which the runtime clears faster than a loop stores; negative zero is
    /// not.
    static void fillNew(T* first, T* last, T const& value) noexcept {
        static constexpr unsigned char zeroBits[sizeof(T)] = {};
        // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the bits are what is asked for
        if (std::memcmp(&value, zeroBits, sizeof(T)) == 0) {
            if (first != last)
                std::memset(static_cast<void*>(first), 0, static_cast<std::size_t>(last - first) * sizeof(T));
        } else {
            T const fill = value; // a local one, which the stores cannot change
            for (; first != last; ++first)
                *first = fill;
        }
    }

    std::size_t grownCapacity(std::size_t n) const {
        if (n > maxLength)
            throw std::length_error("vector too long");
        std::size_t const old = capacity();
        return old > maxLength - old / 2 || n > old + old / 2 ? n : old + old / 2;
    }

    void reallocate(std::size_t newCapacity) {
        std::size_t const n = length();
        T* const fresh = allocate(newCapacity);
        copy(_begin, n, fresh);
        Allocator().deallocate(_begin, capacity());
        _begin = fresh;
        _end = fresh + n;
        _capacityEnd = fresh + newCapacity;
    }

    T* _begin = nullptr;
    T* _end = nullptr;
    T* _capacityEnd = nullptr;
};

/// Real elements, on 64-byte boundaries.
using RealArray = ElementArray<double, RecyclingAllocator>;

} // namespace Tervane::Math::Detail
