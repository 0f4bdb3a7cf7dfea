// The audio records of the demo tune.
#pragma once

#include "protocol/render_visual_data.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

namespace halvenor::bench {

/// One for every 50 ms. Ends the program when the build has not made them.
inline const std::vector<RenderVisualData>& DemoRecords() {
  static const std::vector<RenderVisualData> records = [] {
    std::vector<RenderVisualData> read;
    std::ifstream file(HALVENOR_DEMO_RECORDS, std::ios::binary);
    RenderVisualData record;
    while (file.read(reinterpret_cast<char*>(&record), sizeof record))
      read.push_back(record);
    if (read.empty()) {
      std::fprintf(stderr, "no audio records in %s\n", HALVENOR_DEMO_RECORDS);
      std::exit(1);
    }
    return read;
  }();
  return records;
}

} // namespace halvenor::bench
