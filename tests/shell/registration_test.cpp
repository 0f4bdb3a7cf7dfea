#include "shell/host_requests.h"
#include "tests/shell/shell_test.h"

#include <array>
#include <pthread.h>

namespace {
bool failMutex = false;
bool failMemory = false;
} // namespace

extern "C" {
int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
int __wrap_pthread_mutex_init(pthread_mutex_t* native, const pthread_mutexattr_t* attributes) {
  return failMutex ? 11 : __real_pthread_mutex_init(native, attributes);
}
void* __real_NewPtrClear(int32_t);
void* __wrap_NewPtrClear(int32_t size) {
  return failMemory ? nullptr : __real_NewPtrClear(size);
}
}

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

HostMessage taken;
FourCharCode takenCode;
Status answer;

Status Take(void*, FourCharCode code, HostMessage* message) {
  taken = *message;
  takenCode = code;
  return answer;
}

class Registration : public stand_ins::StandInTest {};

// Read as the host would, byte by byte, with a pointer's width where the record has pointers.
template <typename Number>
Number At(std::size_t offset, std::size_t pointersBefore = 0) {
  Number number;
  std::memcpy(&number, taken.body.bytes + offset + pointersBefore * kPointerGrowth, sizeof number);
  return number;
}

TEST_F(Registration, TheRecordIsThePublishedOne) {
  PluginInitMessage message = {10, 1, nullptr, Take};
  answer = 0;
  EXPECT_EQ(RegisterVisualPlugin(&message), 0);
  EXPECT_EQ(takenCode, Code("rvis"));
  EXPECT_EQ(taken.majorVersion, 10U);
  EXPECT_EQ(taken.minorVersion, 1U);
  EXPECT_EQ(taken.size, sizeof(void*) == 4 ? 124U : 132U);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(taken.body.bytes), 10),
            std::string("\x08Halvenor\0", 10));
  EXPECT_EQ(At<std::uint32_t>(64), 0x28U);
  EXPECT_EQ(At<std::uint32_t>(68), Code("hook"));
  EXPECT_EQ(std::string(reinterpret_cast<char*>(taken.body.bytes) + 72, 4),
            std::string("\x00\x02\x80\x00", 4));
  EXPECT_EQ(At<VisualHandlerProc>(76), &VisualPluginHandler);
  EXPECT_EQ(At<void*>(80, 1), nullptr);
  EXPECT_EQ((At<std::array<std::uint32_t, 3>>(84, 2)), (std::array<std::uint32_t, 3>{50, 2, 2}));
  EXPECT_EQ((At<std::array<std::int16_t, 7>>(96, 2)),
            (std::array<std::int16_t, 7>{64, 64, 32767, 32767, 0, 0, 0}));
}

TEST_F(Registration, TheEntryAnswersWhateverTheHostSays) {
  for (const Status status : {0, -1, 1234}) {
    answer = status;
    PluginInitMessage message = {10, 1, nullptr, Take};
    EXPECT_EQ(iTunesPluginMainMachO(message::kInit, &message, nullptr), 0);
    EXPECT_EQ(RegisterVisualPlugin(&message), status);
  }
  EXPECT_EQ(iTunesPluginMainMachO(message::kCleanup, nullptr, nullptr), 0);
  for (const FourCharCode code : {message::kShow, message::kIdle, Code("what"), 0U})
    EXPECT_EQ(iTunesPluginMainMachO(code, nullptr, nullptr), status::kNotHandled);
  PluginInitMessage nobody = {10, 1, nullptr, nullptr};
  for (PluginInitMessage* message : {&nobody, static_cast<PluginInitMessage*>(nullptr)})
    EXPECT_EQ(iTunesPluginMainMachO(message::kInit, message, nullptr), status::kNotHandled);
  EXPECT_NE(renderer, nullptr);
  EXPECT_THAT(log_.Take(), IsEmpty());
}

TEST_F(Registration, GoesOnWithoutAMutexOfItsOwn) {
  Renderer* const kept = renderer;
  renderer = nullptr; // as at the start of the process
  failMutex = true;
  PluginInitMessage message = {10, 1, nullptr, Take};
  answer = 7;
  EXPECT_EQ(RegisterVisualPlugin(&message), 7);
  failMutex = false;
  EXPECT_THAT(log_.Take(), ElementsAre(" Failed creating mutex"));
  delete renderer;
  renderer = kept;
  EXPECT_EQ(VisualPluginHandler(message::kIdle, nullptr, nullptr), 0); // and can still lock
}

TEST_F(Registration, WithoutMemoryThereIsNoRecord) {
  TestHost host;
  failMemory = true;
  EXPECT_EQ(host.Init(), status::kOutOfMemory);
  failMemory = false;
  EXPECT_EQ(host.refCon, nullptr);
  EXPECT_THAT(host.requests, IsEmpty());
}

TEST_F(Registration, RequestsCarryTheirArguments) {
  std::uint8_t buffer[8] = {};
  std::uint32_t sizeRead = 99;
  answer = -17;
  const auto expect = [](Status result, FourCharCode code) {
    EXPECT_EQ(result, -17);
    EXPECT_EQ(takenCode, code);
    EXPECT_EQ(taken.majorVersion, 10U);
    EXPECT_EQ(taken.size, sizeof taken);
  };
  expect(PlayerGetPluginFileSpec(nullptr, Take, reinterpret_cast<FileSpec*>(buffer)), Code("pspc"));
  EXPECT_EQ(At<void*>(0), buffer);
  expect(PlayerGetPluginData(nullptr, Take, buffer, 8, nullptr), Code("gprf"));
  expect(PlayerGetPluginData(nullptr, Take, buffer, 8, &sizeRead), Code("gprf"));
  EXPECT_EQ(At<void*>(0), buffer);
  EXPECT_EQ(At<std::uint32_t>(4, 1), 8U);
  EXPECT_EQ(sizeRead, 0U);
  expect(PlayerSetPluginData(nullptr, Take, buffer, 116), Code("sprf"));
  EXPECT_EQ(At<std::uint32_t>(4, 1), 116U);
  expect(PlayerSetFullScreen(nullptr, Take, true), Code("sful"));
  EXPECT_EQ(At<std::uint8_t>(0), 1);
  expect(PlayerSetFullScreenOptions(nullptr, Take, 16, 32, 24, -1, 480), Code("sfop"));
  const std::int16_t halves[] = {16, 32, 24, -1, 480};
  EXPECT_EQ(std::memcmp(taken.body.bytes, halves, sizeof halves), 0);
  expect(ITCallApplication(nullptr, Take, Code("any "), nullptr), Code("any "));
  EXPECT_THAT(taken.body.bytes, testing::Each(0));
}

} // namespace
} // namespace halvenor
