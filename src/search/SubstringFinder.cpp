// SPDX-License-Identifier: GPL-3.0-or-later

#include "search/SubstringFinder.h"

#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define VESKO_X86 1
#endif

namespace Vesko {

namespace {

// The scalar remainder of a search, and the whole of it where no vector
// instructions serve.
const char *findScalar(const char *begin, const char *end, const char *needle, std::size_t n)
{
    if (std::size_t(end - begin) < n)
        return nullptr;
    const char *last = end - n;
    for (const char *at = begin; at <= last;) {
        at = static_cast<const char *>(std::memchr(at, needle[0], std::size_t(last - at) + 1));
        if (!at)
            return nullptr;
        if (std::memcmp(at + 1, needle + 1, n - 1) == 0)
            return at;
        ++at;
    }
    return nullptr;
}

#ifdef VESKO_X86

const char *findSse2(const char *begin, const char *end, const char *needle, std::size_t n)
{
    const __m128i first = _mm_set1_epi8(needle[0]);
    const __m128i last = _mm_set1_epi8(needle[n - 1]);
    const char *at = begin;
    // Both loads of a block stay within the buffer.
    while (std::size_t(end - at) >= n - 1 + 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at + n - 1));
        unsigned mask = unsigned(
            _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
        while (mask) {
            const int bit = __builtin_ctz(mask);
            if (std::memcmp(at + bit + 1, needle + 1, n - 2) == 0)
                return at + bit;
            mask &= mask - 1;
        }
        at += 16;
    }
    return findScalar(at, end, needle, n);
}

__attribute__((target("avx2"))) const char *findAvx2(
    const char *begin, const char *end, const char *needle, std::size_t n)
{
    const __m256i first = _mm256_set1_epi8(needle[0]);
    const __m256i last = _mm256_set1_epi8(needle[n - 1]);
    const char *at = begin;
    while (std::size_t(end - at) >= n - 1 + 32) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(at));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(at + n - 1));
        unsigned mask = unsigned(_mm256_movemask_epi8(
            _mm256_and_si256(_mm256_cmpeq_epi8(a, first), _mm256_cmpeq_epi8(b, last))));
        while (mask) {
            const int bit = __builtin_ctz(mask);
            if (std::memcmp(at + bit + 1, needle + 1, n - 2) == 0)
                return at + bit;
            mask &= mask - 1;
        }
        at += 32;
    }
    return findSse2(at, end, needle, n);
}

// One byte, the whole of a one-character query: most searches for one find
// it within a few bytes of where they start, so the call costs more than the
// reading, and this is cheaper to enter than memchr().
__attribute__((target("avx2"))) const char *findByteAvx2(
    const char *begin, const char *end, char byte)
{
    const __m256i wanted = _mm256_set1_epi8(byte);
    const char *at = begin;
    while (end - at >= 32) {
        const unsigned mask = unsigned(_mm256_movemask_epi8(
            _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(at)), wanted)));
        if (mask)
            return at + __builtin_ctz(mask);
        at += 32;
    }
    return static_cast<const char *>(std::memchr(at, byte, std::size_t(end - at)));
}

const bool hasAvx2 = __builtin_cpu_supports("avx2");

#endif

} // namespace

SubstringFinder::SubstringFinder(const char *needle, std::size_t length)
    : m_needle(needle)
    , m_length(length)
{ }

const char *SubstringFinder::find(const char *begin, const char *end) const
{
    if (m_length == 0)
        return begin;
#ifdef VESKO_X86
    if (m_length == 1 && hasAvx2)
        return findByteAvx2(begin, end, m_needle[0]);
#endif
    if (m_length == 1)
        return static_cast<const char *>(std::memchr(begin, m_needle[0], std::size_t(end - begin)));
#ifdef VESKO_X86
    if (hasAvx2)
        return findAvx2(begin, end, m_needle, m_length);
    return findSse2(begin, end, m_needle, m_length);
#else
    return findScalar(begin, end, m_needle, m_length);
#endif
}

} // namespace Vesko
