# zlib and libjpeg-turbo encode tiles; Debian: zlib1g-dev libjpeg62-turbo-dev.
find_package(ZLIB REQUIRED)
find_package(JPEG REQUIRED)
