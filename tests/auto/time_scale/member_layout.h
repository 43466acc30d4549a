#pragma once

#include <cstddef>
#include <cstring>

/// Where private members and virtual functions of a class lie. Software built against the library has both in its
/// code, so they may not move unnoticed. Works with the Itanium C++ ABI of GCC and Clang on x86-64.
namespace MemberLayout {

template <typename Tag>
struct Offset
{
    static inline std::ptrdiff_t value = -1;
};

template <typename Pointer>
std::ptrdiff_t leadingWord(Pointer pointer)
{
    std::ptrdiff_t word = -1;
    std::memcpy(&word, &pointer, sizeof(word));
    return word;
}

// An explicit instantiation may name private members; this is how the offsets get out.
template <typename Tag, auto member>
struct Publish
{
    static inline const bool isDone = [] {
        Offset<Tag>::value = leadingWord(member);
        return true;
    }();
};

/// Index in the virtual table of the class of a virtual member function.
template <typename Function>
std::ptrdiff_t virtualSlot(Function function)
{
    return (leadingWord(function) - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

} // namespace MemberLayout

/// At namespace scope: makes MEMBER_OFFSET(Class, member) known.
#define PUBLISH_MEMBER(Class, member)                                                                                  \
    struct Class##_##member;                                                                                           \
    template struct MemberLayout::Publish<Class##_##member, &VeskTimeline::Class::member>;
#define MEMBER_OFFSET(Class, member) MemberLayout::Offset<Class##_##member>::value
