# JSON for Modern C++ reads and writes indexes and summaries; Debian: nlohmann-json3-dev.
find_package(nlohmann_json 3.11 REQUIRED)
