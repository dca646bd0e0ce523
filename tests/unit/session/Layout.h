#ifndef UNIT_SESSION_LAYOUT_H
#define UNIT_SESSION_LAYOUT_H

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <type_traits>

/** Where the compiler put virtual functions and members, as the common C++ ABI of Linux has it. */
namespace layout {

/** The virtual slot of a member function; -1 when it is not virtual. */
template <class Function>
long slotOf(Function function)
{
    static_assert(std::is_member_function_pointer_v<Function>);
    struct
    {
        std::uintptr_t ptr; // 1 + the slot's offset in the table, when virtual
        std::ptrdiff_t adjustment;
    } representation = {};
    static_assert(sizeof(representation) == sizeof(function));
    std::memcpy(&representation, &function, sizeof(function));
    return (representation.ptr & 1) != 0 ? static_cast<long>((representation.ptr - 1) / sizeof(void*)) : -1;
}

/** The slots of functions, in the order given: "2 3 4". */
template <class... Functions>
std::string slots(Functions... functions)
{
    std::string all;
    ((all += (all.empty() ? "" : " ") + std::to_string(slotOf(functions))), ...);
    return all;
}

template <class Class, class T>
std::size_t offsetOf(T Class::*member)
{
    std::ptrdiff_t offset = 0;
    static_assert(sizeof(offset) == sizeof(member));
    std::memcpy(&offset, &member, sizeof(offset));
    return static_cast<std::size_t>(offset);
}

template <class T>
std::string typeAndValue(const T& value)
{
    std::ostringstream text;
    if constexpr (std::is_same_v<T, std::string>) {
        text << "s" << (value.empty() ? "" : "=" + value);
    } else if constexpr (std::is_same_v<T, bool>) {
        text << "b=" << value;
    } else if constexpr (std::is_pointer_v<T>) {
        text << "p" << (value == nullptr ? "" : "!");
    } else if constexpr (std::is_class_v<T>) {
        text << "record";
    } else {
        static_assert(std::is_integral_v<T>);
        text << (std::is_signed_v<T> ? "i" : "u") << 8 * sizeof(T) << "=";
        value == T(-1) && std::is_unsigned_v<T> ? text << "max" : text << value;
    }
    return text.str();
}

/**
 * Types and values of an object's members, "s u32=100 ...", when these are all of its members, in the order
 * given, packed behind its table pointer if it has one; else what is out of place.
 */
template <class Class, class... Members>
std::string members(const Class& object, Members... list)
{
    std::string all;
    std::size_t end = std::is_polymorphic_v<Class> ? sizeof(void*) : 0;
    std::size_t position = 0;
    const auto consider = [&](auto member) {
        using T = std::decay_t<decltype(object.*member)>;
        const std::size_t expected = (end + alignof(T) - 1) / alignof(T) * alignof(T);
        if (offsetOf(member) != expected) {
            all += "[member " + std::to_string(position) + " is out of place] ";
        }
        end = offsetOf(member) + sizeof(T);
        ++position;
        all += (all.empty() ? "" : " ") + typeAndValue(object.*member);
    };
    (consider(list), ...);
    const std::size_t size = (end + alignof(Class) - 1) / alignof(Class) * alignof(Class);
    return size == sizeof(Class) ? all : all + " [and more]";
}

} // namespace layout

#endif
