#pragma once

namespace halvenor {

/// Draws the bound texture, whole and upright, as one quad between two corners. Needs a current
/// context.
void DrawTexturedQuad(float left, float bottom, float right, float top);

} // namespace halvenor
