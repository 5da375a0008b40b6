#pragma once

/// @file
/// `Expected<T, ErrorCode2>`, the result of an operation that can fail.
///
/// @code
/// using namespace Tervane::System;
/// Expected<String2, ErrorCode2> const text = utf8ToUtf8("volts", 5);
/// if (text) {
///     std::cout << *text << '\n';
/// } else if (text.error() == ErrorCode2(std::errc::illegal_byte_sequence)) {
///     std::cerr << "not UTF-8\n";
/// }
/// std::cout << text.value() << '\n'; // throws bad_expected_access<ErrorCode2> when there is an error
/// @endcode

#include <System/Detail/ErrorCode2.h>
#include <System/Detail/Exceptions.h>
#include <System/Export.h>

#include <new>
#include <type_traits>
#include <utility>

namespace Tervane::System {

namespace detail {

/// Throws `bad_expected_access<ErrorCode2>` with a copy of @p error.
[[noreturn]] TVNCORE_API void throwBadExpectedAccess(ErrorCode2 const& error);

} // namespace detail

/// Either a value of type `T` or an error of type `E`, never both.
///
/// A flag comes first and names the alternative that is alive; the storage behind it is shared by both.
/// Moving from a result moves the value or the error out of it and leaves its flag as it was (compatibility
/// C7).
///
/// Ignoring a result draws a warning. A result may be read from several threads at once.
///
/// @tparam T an object type, which may be a pointer.
/// @tparam E `ErrorCode2`.
template<class T, class E>
class [[nodiscard]] Expected {
    static_assert(std::is_object_v<T> && !std::is_array_v<T> && !std::is_const_v<T>);
    static_assert(std::is_same_v<E, ErrorCode2>);

public:
    /// A default-constructed value.
    Expected() noexcept(
        std::is_nothrow_default_constructible_v<T>) requires std::is_default_constructible_v<T>
        : _hasValue(true), _value() {}

    /// @{
    /// A result that holds @p value.
    Expected(T const& value) noexcept(std::is_nothrow_copy_constructible_v<T>)
        : _hasValue(true), _value(value) {}
    Expected(T&& value) noexcept(std::is_nothrow_move_constructible_v<T>)
        : _hasValue(true), _value(std::move(value)) {}
    /// @}

    /// @{
    /// A result that holds @p error.
    Expected(E const& error) noexcept : _hasValue(false), _error(error) {}
    Expected(E&& error) noexcept : _hasValue(false), _error(std::move(error)) {}
    template<ErrorCodeEnumeration Enumeration>
    Expected(Enumeration error) : _hasValue(false), _error(ErrorCodeEnumConstructor<Enumeration>{}(error)) {}
    /// @}

    /// @{
    /// A result in the same state as @p other, with a copy of its value or error, or with the thing itself
    /// moved here.
    Expected(Expected const& other) noexcept(std::is_nothrow_copy_constructible_v<T>)
        : _hasValue(other._hasValue) {
        if (_hasValue)
            construct(_value, other._value);
        else
            construct(_error, other._error);
    }
    Expected(Expected&& other) noexcept(std::is_nothrow_move_constructible_v<T>)
        : _hasValue(other._hasValue) {
        if (_hasValue)
            construct(_value, std::move(other._value));
        else
            construct(_error, std::move(other._error));
    }
    /// @}

    ~Expected() {
        if (_hasValue)
            destroy(_value);
        else
            destroy(_error);
    }

    /// @{
    /// Makes this result equal to @p other, in state and content.
    ///
    /// Where the states differ, the new content is made before the old one is destroyed: if that throws, this
    /// result is as it was. Where they agree, the value's or the error's own assignment decides.
    Expected& operator=(Expected const& other) noexcept(
        std::is_nothrow_copy_constructible_v<T>&& std::is_nothrow_move_constructible_v<T>&&
            std::is_nothrow_copy_assignable_v<T>) {
        if (_hasValue && other._hasValue) {
            _value = other._value;
        } else if (_hasValue) {
            E error(other._error);
            replace(_value, _error, std::move(error));
            _hasValue = false;
        } else if (other._hasValue) {
            T value(other._value);
            replace(_error, _value, std::move(value));
            _hasValue = true;
        } else {
            _error = other._error;
        }
        return *this;
    }
    Expected& operator=(Expected&& other) noexcept(
        std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<T>) {
        if (_hasValue && other._hasValue) {
            _value = std::move(other._value);
        } else if (_hasValue) {
            E error(std::move(other._error));
            replace(_value, _error, std::move(error));
            _hasValue = false;
        } else if (other._hasValue) {
            T value(std::move(other._value));
            replace(_error, _value, std::move(value));
            _hasValue = true;
        } else {
            _error = std::move(other._error);
        }
        return *this;
    }
    /// @}

    /// Exchanges the two results, whatever their states. If a move throws while the states differ, both
    /// results keep their states.
    void
    swap(Expected& other) noexcept(std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_swappable_v<T>) {
        if (_hasValue && other._hasValue) {
            using std::swap;
            swap(_value, other._value);
        } else if (_hasValue) {
            E error(std::move(other._error));
            replace(other._error, other._value, std::move(_value));
            other._hasValue = true;
            replace(_value, _error, std::move(error));
            _hasValue = false;
        } else if (other._hasValue) {
            other.swap(*this);
        } else {
            std::swap(_error, other._error);
        }
    }

    /// @{
    /// Whether the result holds a value.
    bool has_value() const noexcept { return _hasValue; }
    explicit operator bool() const noexcept { return _hasValue; }
    /// @}

    /// @{
    /// The value, unchecked.
    ///
    /// @pre `has_value()`; `value()` is the checked alternative.
    T* operator->() noexcept { return __builtin_addressof(_value); }
    T const* operator->() const noexcept { return __builtin_addressof(_value); }
    T& operator*() & noexcept { return _value; }
    T const& operator*() const& noexcept { return _value; }
    T&& operator*() && noexcept { return std::move(_value); }
    T const&& operator*() const&& noexcept { return std::move(_value); }
    /// @}

    /// @{
    /// The error, unchecked.
    ///
    /// @pre `!has_value()`.
    E& error() & noexcept { return _error; }
    E const& error() const& noexcept { return _error; }
    E&& error() && noexcept { return std::move(_error); }
    E const&& error() const&& noexcept { return std::move(_error); }
    /// @}

    /// @{
    /// The value.
    ///
    /// @throws bad_expected_access<ErrorCode2> with a copy of the error if the result holds one; the result
    ///         is not changed
    T& value() & {
        if (!_hasValue)
            detail::throwBadExpectedAccess(_error);
        return _value;
    }
    T const& value() const& {
        if (!_hasValue)
            detail::throwBadExpectedAccess(_error);
        return _value;
    }
    T&& value() && {
        if (!_hasValue)
            detail::throwBadExpectedAccess(_error);
        return std::move(_value);
    }
    T const&& value() const&& {
        if (!_hasValue)
            detail::throwBadExpectedAccess(_error);
        return std::move(_value);
    }
    /// @}

private:
    template<class Alternative, class Source>
    static void construct(Alternative& storage, Source&& source) {
        ::new (static_cast<void*>(__builtin_addressof(storage))) Alternative(std::forward<Source>(source));
    }
    template<class Alternative>
    static void destroy(Alternative& storage) noexcept {
        storage.~Alternative();
    }

    /// Ends the life of @p dying and starts that of @p born in the same storage. If that throws, @p dying is
    /// as it was.
    template<class Dying, class Born>
    static void replace(Dying& dying, Born& born,
                        Born&& content) noexcept(std::is_nothrow_move_constructible_v<Born>) {
        if constexpr (std::is_nothrow_move_constructible_v<Born>) {
            destroy(dying);
            construct(born, std::forward<Born>(content));
        } else {
            Dying saved(std::move(dying));
            destroy(dying);
            try {
                construct(born, std::forward<Born>(content));
            } catch (...) {
                construct(dying, std::move(saved));
                throw;
            }
        }
    }

    bool _hasValue;
    union {
        T _value;
        E _error;
    };
};

/// The result of an operation that can fail and has nothing to return: success, or an error.
template<>
class [[nodiscard]] Expected<void, ErrorCode2> {
public:
    /// Success.
    Expected() noexcept : _hasValue(true) {}

    /// @{
    /// A result that holds @p error.
    Expected(ErrorCode2 const& error) noexcept : _hasValue(false), _error(error) {}
    Expected(ErrorCode2&& error) noexcept : _hasValue(false), _error(std::move(error)) {}
    template<ErrorCodeEnumeration Enumeration>
    Expected(Enumeration error) : _hasValue(false), _error(ErrorCodeEnumConstructor<Enumeration>{}(error)) {}
    /// @}

    /// A copy of `other`.
    TVNCORE_API Expected(Expected const& other) noexcept;
    /// Takes over what `other` holds.
    TVNCORE_API Expected(Expected&& other) noexcept;
    TVNCORE_API ~Expected();
    /// Becomes a copy of `other`.
    TVNCORE_API Expected& operator=(Expected const& other) noexcept;
    /// Takes over what `other` holds.
    TVNCORE_API Expected& operator=(Expected&& other) noexcept;

    /// Exchanges the two results, whatever their states.
    TVNCORE_API void swap(Expected& other) noexcept;

    /// @{
    /// Whether the operation succeeded.
    bool has_value() const noexcept { return _hasValue; }
    explicit operator bool() const noexcept { return _hasValue; }
    /// @}

    /// @{
    /// The error, unchecked.
    ///
    /// @pre `!has_value()`.
    ErrorCode2& error() & noexcept { return _error; }
    ErrorCode2 const& error() const& noexcept { return _error; }
    ErrorCode2&& error() && noexcept { return std::move(_error); }
    ErrorCode2 const&& error() const&& noexcept { return static_cast<ErrorCode2 const&&>(_error); }
    /// @}

    /// @{
    /// Does nothing on success.
    ///
    /// @throws bad_expected_access<ErrorCode2> with a copy of the error if the result holds one; the result
    ///         is not changed
    TVNCORE_API void value() &;
    TVNCORE_API void value() const&;
    TVNCORE_API void value() &&;
    TVNCORE_API void value() const&&;
    /// @}

private:
    bool _hasValue;
    union {
        ErrorCode2 _error;
    };
};

extern template class TVNCORE_API Expected<String2, ErrorCode2>;

} // namespace Tervane::System
