#include "config/preset_switcher.h"

namespace halvenor {}
