// Keeps what a host sees of a playback.
#pragma once

#include "support/playback.h"

namespace qel::test {

class Recorder : public SessionObserver {
  public:
    // Both outlive the recorder.
    Recorder(Playback& playback, const HeadlessPlatform& platform, bool keepFrames)
        : playback_(playback), platform_(platform), keepFrames_(keepFrames) {}

    void eventRaised(const EventNotice& notice) override;
    void serviceCalled(const ServiceCall& call) override;

  private:
    void keepFrame(const FrameRecord& frame);

    Playback& playback_;
    const HeadlessPlatform& platform_;
    bool keepFrames_;
};

}  // namespace qel::test
