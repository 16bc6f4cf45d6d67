// Fault translation with Microsoft's structured exceptions, and none where there is no way. Linux: see
// SehTranslatorSignals.cpp.
#include <qutil/SehTranslator.h>

#include "FaultSignals.h"

#if defined(_MSC_VER)

#include <windows.h>

#include <qutil/SehException.h>

namespace qutil {

namespace {

void throwFault(unsigned int code, _EXCEPTION_POINTERS* pPointers) {
    throw SehException(code, pPointers->ExceptionRecord->ExceptionAddress);
}

} // namespace

SehTranslator::SehTranslator() : mPrevious(_set_se_translator(throwFault)) {
}

SehTranslator::~SehTranslator() {
    _set_se_translator(mPrevious);
}

bool SehTranslator::isEffective() {
    return true;
}

} // namespace qutil

#elif !defined(ZQX_FAULT_SIGNALS)

namespace qutil {

SehTranslator::SehTranslator() = default;

SehTranslator::~SehTranslator() = default;

bool SehTranslator::isEffective() {
    return false;
}

} // namespace qutil

#endif
