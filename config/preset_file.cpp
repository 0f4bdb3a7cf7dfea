#include "config/preset_file.h"

namespace halvenor {}
