#include "platform/ports.h"

#include "platform/carbon.h"

#include <atomic>
#include <cstdio>
#include <unistd.h>

namespace {

void RingTheTerminal(int /*ticks*/) {
  if (isatty(STDERR_FILENO) != 0) std::fputc('\a', stderr);
}

std::atomic<WindowRef> frontWindow = nullptr;
std::atomic<HalvenorAlertProc> alertSound = RingTheTerminal;
HalvenorNoticeProc noticeReceiver = nullptr;
void* noticeRefCon = nullptr;

} // namespace

Rect* GetPortBounds(GrafPtr port, Rect* bounds) {
  *bounds = port == nullptr ? Rect{} : port->bounds;
  return bounds;
}

void SetFrameUse(GrafPtr port, HalvenorFrameUse use) {
  std::atomic_ref(port->frameUse).store(use);
}

void SetFrontWindow(WindowRef window) {
  frontWindow = window;
}

WindowRef FrontWindow(void) {
  return frontWindow;
}

void SetAlertSound(HalvenorAlertProc sound) {
  alertSound = sound != nullptr ? sound : RingTheTerminal;
}

void SysBeep(int16_t ticks) {
  alertSound.load()(ticks);
}

void SetNoticeReceiver(HalvenorNoticeProc receiver, void* refCon) {
  noticeReceiver = receiver;
  noticeRefCon = refCon;
}

int GiveNotice(const char* message) {
  if (noticeReceiver == nullptr) return 0;
  noticeReceiver(noticeRefCon, message);
  return 1;
}
