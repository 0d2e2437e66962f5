// Compiles the fills, gradients, lines and shapes of a movie source.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "author/records.h"
#include "author/source_build.h"

namespace qel::author {

// Each function adds the record of a character, behind those of styles that only it has. All throw SourceError.
class ShapeCompiler {
  public:
    explicit ShapeCompiler(SourceBuild& build) : build_(build) {}

    void defineFill(const SourceCharacter& character);
    void defineGradient(std::uint16_t id, const SourceValue& value);
    void defineLine(const SourceCharacter& character);
    void defineShape(const SourceCharacter& character);
    void defineMorph(const SourceCharacter& character);  // behind the shapes that it names

  private:
    // A fill whose identifier is above that of the path before: of overlapping fills of one shape the higher identifier
    // is drawn, and what is listed later belongs on top. A style that lies below gets a copy.
    std::uint16_t fillAbove(std::uint16_t before, const SourceValue& value, ShapeRecord& shape);
    std::uint16_t lineFor(const SourceValue& value) const;

    // What a morph needs to know of the paths of a shape.
    struct PathSummary {
        std::uint16_t line = noCharacter, fill = noCharacter;
        std::size_t segments = 0;
    };
    const std::vector<PathSummary>& pathsOf(const SourceValue& name) const;

    SourceBuild& build_;
    std::map<std::uint16_t, std::vector<PathSummary>> paths_;  // of each shape
    std::vector<std::pair<std::uint16_t, SourcePaint>> inlineFills_;
};

}  // namespace qel::author
