# Sources that include no platform header and so build natively too, and the tests that run there.
set(PLATFORM_FREE_SOURCES
  snapshot/checksum.cpp
)
set(PLATFORM_FREE_TESTS
)
