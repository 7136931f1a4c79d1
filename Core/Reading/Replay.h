#pragma once

#include <nlohmann/json_fwd.hpp>

#include "Core/Reading/Capture.h"

namespace ravik {

/// A captured reading through the whole diagnosis again: everything that the program would have known, said and
/// offered, as one JSON object. Pure: no process is read and nothing is changed.
nlohmann::json replay(const Capture& capture);

}  // namespace ravik
