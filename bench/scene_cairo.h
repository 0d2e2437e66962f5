// The same scenes drawn by Cairo into the same kind of pixels, for comparison.
#pragma once

#include <memory>

#include "bench/scene.h"

namespace qel::bench {

class CairoScene {
  public:
    explicit CairoScene(const Scene& scene);
    ~CairoScene();
    void drawFrame();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace qel::bench
