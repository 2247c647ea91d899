// The fields of number formats in documents.
#pragma once

#include "core/ArchiveFields.h"

#include <zel/Scale.h>

namespace zel {

// A function of the host's is not stored.
inline void ExchangeFormat(CArchive& ar, NumberFormat& format) {
    int factor = static_cast<int>(format.factor);
    Exchange(ar, factor, format.decimals);
    format.factor = factor == 1   ? NumberFormat::Factor::SI
                    : factor == 2 ? NumberFormat::Factor::NONE
                                  : NumberFormat::Factor::POWERS;
    ExchangeFlag(ar, format.percent);
    ExchangeText(ar, format.grouping);
    ExchangeText(ar, format.prefix);
    ExchangeText(ar, format.suffix);
}

}  // namespace zel
