#include "config/preset_library.h"

namespace halvenor {}
