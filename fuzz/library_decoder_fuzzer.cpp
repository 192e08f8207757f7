// SPDX-License-Identifier: GPL-3.0-or-later
//
// Feeds arbitrary bytes to the library decoder. Besides not crashing, a
// document that decodes must survive a round trip: encoding what was read
// and decoding it again gives a library that encodes to the same bytes.

#include "library/LibraryCoding.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), qsizetype(size));
    QString error;
    const std::optional<Vesko::Library> library = Vesko::decodeLibrary(document, &error);
    if (!library) {
        if (error.isEmpty())
            std::abort(); // every failure must say why
        return 0;
    }
    const QByteArray encoded = Vesko::encodeLibrary(*library);
    const std::optional<Vesko::Library> again = Vesko::decodeLibrary(encoded, &error);
    if (!again || Vesko::encodeLibrary(*again) != encoded)
        std::abort();
    return 0;
}
