// SPDX-License-Identifier: GPL-3.0-or-later
//
// Finds a byte string in a byte buffer, sixteen or thirty-two bytes at a
// time: a position is a candidate only where both the first and the last byte
// of the needle stand at the right distance, and only candidates are compared
// in full.

#pragma once

#include <cstddef>

namespace Vesko {

class SubstringFinder
{
public:
    //! A finder of \a needle (\a length bytes, not copied: it must outlive the finder).
    SubstringFinder(const char *needle, std::size_t length);

    //! The first occurrence of the needle in [\a begin, \a end), or nullptr.
    //! An empty needle is found at \a begin.
    const char *find(const char *begin, const char *end) const;

private:
    const char *m_needle;
    std::size_t m_length;
};

} // namespace Vesko
