// The report of `qel run`: JSON Lines, one for each event and, where asked for, each service call, as they happen.
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "host/headless_platform.h"
#include "host/session_observer.h"

namespace qel::cli {

class ReportWriter : public SessionObserver {
  public:
    // Times are taken from `clock`.
    ReportWriter(std::ostream& out, const HeadlessPlatform& clock, bool withServices)
        : out_(out), clock_(clock), withServices_(withServices) {}

    void eventRaised(const EventNotice& notice) override;
    void serviceCalled(const ServiceCall& call) override;
    void end(std::string_view how);  // the last line

  private:
    std::ostream& out_;
    const HeadlessPlatform& clock_;
    bool withServices_;
    std::uint64_t frames_ = 0;
};

}  // namespace qel::cli
