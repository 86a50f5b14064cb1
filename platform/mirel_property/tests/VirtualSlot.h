#pragma once

#include <cstddef>
#include <cstring>

/**
 * The position of a virtual operation among those of its class, from 0, or -1 where the platform
 * does not tell. Programs compiled against an earlier release call by position, so the order of
 * the declarations is part of the interface.
 *
 * A pointer to a virtual member starts with 1 + the operation's offset in the table (Itanium C++
 * ABI, section 2.3, as used on x86-64).
 */
template <class Member>
std::ptrdiff_t virtualSlot(Member member)
{
#if defined(__x86_64__) && !defined(_WIN32)
    std::ptrdiff_t pointer = 0;
    std::memcpy(&pointer, &member, sizeof pointer);
    return (pointer - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
#else
    static_cast<void>(member);
    return -1;
#endif
}

/** Whether `member` has that position, or it cannot be determined. */
template <class Member>
bool isVirtualSlot(Member member, std::ptrdiff_t slot)
{
    const std::ptrdiff_t found = virtualSlot(member);
    return found == -1 || found == slot;
}
