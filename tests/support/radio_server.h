// Internet radio on loopback; radio.py says what its ways do.
#pragma once

#include "tests/support/servers.h"
#include "tests/support/sound_files.h"

#include <gtest/gtest.h>

#include <fstream>

namespace halvenor {

class RadioServer {
public:
  RadioServer() {
    EXPECT_TRUE(Eventually([&] { return bool(std::ifstream(folder_.Path("port")) >> port_); }));
  }
  [[nodiscard]] std::string Address(const std::string& ways) const {
    return "http://127.0.0.1:" + port_ + "/" + ways;
  }
  /// What it plays: a tone of 1000 Hz, as a file.
  [[nodiscard]] const std::string& Sound() const { return sound_; }
  void Kill() { process_.Kill(); }

private:
  SoundFolder folder_;
  std::string sound_ = folder_.Write("tone.mp3", "lamemp3enc target=bitrate bitrate=128 cbr=true",
                                     {.seconds = 12, .wave = Sine(1000)});
  ServerProcess process_{{"python3", HALVENOR_RADIO, sound_, "16000", folder_.Path("port")}, -1};
  std::string port_;
};

} // namespace halvenor
