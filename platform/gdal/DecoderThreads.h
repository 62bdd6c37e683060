// Threads that the library decodes a source on.
#pragma once

class GDALDataset;

namespace orvo::gdal {

/// Whether the source's format is decoded on threads of the library's own: JPEG 2000 and JPEG XL, also where
/// they stand behind a mosaic.
bool DecodesOnThreads(GDALDataset& dataset);

/// How many threads those formats take from now on, in this process, in place of one for each core.
void SetDecoderThreads(int threads);

}  // namespace orvo::gdal
