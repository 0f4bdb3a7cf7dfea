// Names of GL objects.
#pragma once

#include "raster/state.h"

namespace halvenor::raster {

/// Gives out `count` names that were not in use. The lowest free ones, as drivers do.
template <class Object>
void GiveNames(Names<Object>& names, GLsizei count, GLuint* given) {
  GLuint name = 1;
  for (GLsizei i = 0; i < count; ++i) {
    while (names.count(name) != 0)
      ++name;
    names.emplace(name, nullptr);
    given[i] = name;
  }
}

/// The object called `name`; the first use makes it.
template <class Object>
const std::shared_ptr<Object>& FindOrMake(Names<Object>& names, GLuint name) {
  std::shared_ptr<Object>& object = names[name];
  if (!object) object = std::make_shared<Object>();
  return object;
}

} // namespace halvenor::raster
