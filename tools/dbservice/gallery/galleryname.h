#pragma once

#include "command.h"

namespace dbservice {

/// The option --gallery for the name of the gallery's file, which the client chooses.
About galleryName(bool required);

} // namespace dbservice
