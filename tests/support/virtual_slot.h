#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

/// Order of virtual operations, as the C++ ABI of Linux (Itanium) encodes it: a pointer to a virtual member function
/// holds the byte offset of its slot in the virtual table, plus 1 where the mark of virtual functions is in the pointer
/// itself, or with the mark in the adjustment that follows (ARM).
namespace VirtualSlot {

/// Number of the slot, counted from the class's first virtual function; -1 for a function that is not virtual.
template <typename MemberFunction>
std::ptrdiff_t of(MemberFunction function)
{
    static_assert(sizeof function == 2 * sizeof(std::ptrdiff_t), "not a pointer to a member function");
    std::ptrdiff_t parts[2];
    std::memcpy(parts, &function, sizeof parts);
    constexpr std::ptrdiff_t slotSize = sizeof(void*);
#if defined(__arm__) || defined(__aarch64__)
    return (parts[1] & 1) ? parts[0] / slotSize : -1;
#else
    return (parts[0] & 1) ? (parts[0] - 1) / slotSize : -1;
#endif
}

/// A virtual destructor takes two slots: the complete and the deleting one.
constexpr std::ptrdiff_t destructorSlots = 2;

template <typename... MemberFunctions>
std::vector<std::ptrdiff_t> listOf(MemberFunctions... functions)
{
    return {of(functions)...};
}

/// The slots that follow one another from a first one.
inline std::vector<std::ptrdiff_t> consecutive(std::ptrdiff_t first, std::size_t count)
{
    std::vector<std::ptrdiff_t> slotNumbers(count);
    for (std::size_t i = 0; i < count; ++i)
        slotNumbers[i] = first + static_cast<std::ptrdiff_t>(i);
    return slotNumbers;
}

} // namespace VirtualSlot
