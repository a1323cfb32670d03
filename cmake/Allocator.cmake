# The programs' allocator: jemalloc with transparent huge pages, compiled into the program so that
# it needs no environment. An export makes millions of small blocks and touches hundreds of
# megabytes of fresh memory; jemalloc serves the small blocks faster and, on huge pages, takes a
# few thousand page faults where the C library's allocator takes over a hundred thousand.
# The sanitizer build keeps the sanitizer's allocator, which must see every block.
function(nq_link_allocator target)
    if(NQ_SANITIZE)
        return()
    endif()
    pkg_check_modules(JEMALLOC REQUIRED IMPORTED_TARGET jemalloc)
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/apps/AllocatorConfig.cpp)
    target_link_libraries(${target} PRIVATE PkgConfig::JEMALLOC)
endfunction()
