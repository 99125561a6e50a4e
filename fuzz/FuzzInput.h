#pragma once

// What the sound core's fuzz targets share: reports go nowhere and fatal ones unwind instead of
// ending the process.
#include "base/ErrorReporter.h"

namespace pulsara::fuzz {

class SilentPresenter final : public ErrorPresenter {
public:
    SilentPresenter()
    {
        setFatalErrorsUnwind(true);
        setErrorPresenter(this);
    }
    void present(const ErrorReport&) override { }
};

} // namespace pulsara::fuzz
