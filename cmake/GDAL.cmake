# GDAL reads and writes rasters; Debian: libgdal-dev.
find_package(GDAL 3.6 REQUIRED)
