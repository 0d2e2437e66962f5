// Compiles the characters of a movie source that sound, react to keys and show text.
#pragma once

#include "author/source_build.h"

namespace qel::author {

// Adds the record of a sound, button, command button, text field or compression table. Throws SourceError.
void defineSound(SourceBuild& build, const SourceCharacter& character);
void defineButton(SourceBuild& build, const SourceCharacter& character);
void defineCommandButton(SourceBuild& build, const SourceCharacter& character);
void defineTextField(SourceBuild& build, const SourceCharacter& character);
void defineCompressionTable(SourceBuild& build, const SourceCharacter& character);

}  // namespace qel::author
