// What OrvoPlatform.dll offers.
#include "com/kit/Server.h"

#include "com/orvo_platform/Objects.h"

namespace orvo::com {

const Server& ThisServer() {
    static const Server server{{
        {{0x83bba1ca, 0x393f, 0x462c, {0xbb, 0x9c, 0x71, 0xf6, 0x99, 0x32, 0x5d, 0x7f}},
         L"OrvoPlatform.Envelope",
         L"OrvoPlatform: envelope",
         windows::NewEmptyEnvelopeObject},
        {{0xcfadcf6e, 0x472b, 0x4989, {0x8a, 0x73, 0x57, 0x9a, 0xc2, 0x6f, 0x4e, 0xc8}},
         L"OrvoPlatform.RasterLayer",
         L"OrvoPlatform: raster layer of an image file",
         windows::NewRasterLayerObject},
        {{0x1549230e, 0xbcaf, 0x4131, {0xae, 0x67, 0x1b, 0x3f, 0x19, 0x62, 0x4a, 0x3b}},
         L"OrvoPlatform.RasterWorkspaceFactory",
         L"OrvoPlatform: factory of raster workspaces",
         windows::NewWorkspaceFactoryObject},
        {{0x1dea32de, 0x6a90, 0x4d43, {0xa6, 0x81, 0x8e, 0x28, 0xe3, 0x93, 0x0c, 0xfd}},
         L"OrvoPlatform.UtilTools",
         L"OrvoPlatform: language and free file names",
         windows::NewUtilToolsObject},
        {{0x019a0e86, 0x5ea2, 0x4f84, {0xa5, 0x9f, 0x3b, 0xd0, 0x39, 0xf7, 0xa8, 0xa4}},
         L"OrvoPlatform.RasterConvert",
         L"OrvoPlatform: export and conversion of images",
         windows::NewRasterConvertObject},
    }};
    return server;
}

}  // namespace orvo::com
