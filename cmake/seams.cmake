# The two seams as targets. Include paths are the dependency rule: a target sees only the headers
# of what it links, so `src` cannot reach a platform's insides and only platform/virtual/host's
# target links FFmpeg, libyuv, libjpeg-turbo and SDL2.

# What a recorder application sees.
add_library(nvrhal_api INTERFACE)
target_include_directories(nvrhal_api INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)

# What the library may call.
add_library(platform_api INTERFACE)
add_library(nvrhal::platform ALIAS platform_api)
target_include_directories(platform_api INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform/include>)
