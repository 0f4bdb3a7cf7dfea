#include "platform/ports.h"

Rect* GetPortBounds(GrafPtr port, Rect* bounds) {
  *bounds = port == nullptr ? Rect{} : port->bounds;
  return bounds;
}
