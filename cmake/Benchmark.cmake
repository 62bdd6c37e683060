# Google Benchmark; Debian: libbenchmark-dev.
find_package(benchmark REQUIRED)
