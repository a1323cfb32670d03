// The configuration jemalloc reads at its start, before main and before any environment
// variable is looked at: small blocks and the allocator's own tables on transparent huge pages.
// The variable is the one the library looks up by name, so it must stay unmangled and global.
// An environment variable (MALLOC_CONF) still overrides it for a single run.

extern "C" {
extern const char* malloc_conf;
const char* malloc_conf = "thp:always,metadata_thp:auto";
}
