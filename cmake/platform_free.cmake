# Sources that include no platform header and so build natively too, and the tests that run there.
set(PLATFORM_FREE_SOURCES
  snapshot/checksum.cpp
  snapshot/difference.cpp
  snapshot/exclusion.cpp
  snapshot/list_matching.cpp
  snapshot/object_list.cpp
  snapshot/prune.cpp
  snapshot/record_info.cpp
  snapshot/registry_objects.cpp
  snapshot/state_replay.cpp
  snapshot/text_buffer.cpp
  storage/info_block.cpp
  storage/storage_header.cpp
  storage/storage_names.cpp
)
set(PLATFORM_FREE_TESTS
)
