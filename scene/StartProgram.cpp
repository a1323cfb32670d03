#include "scene/StartProgram.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>

#include "host/Constants.h"

extern char** environ;

namespace scene {

std::vector<std::string> splitCommandLine(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    bool quoted = false;
    for (std::size_t i = 0; i < line.size();) {
        char c = line[i];
        if (c == '\\') {
            std::size_t n = 0;
            while (i < line.size() && line[i] == '\\') {
                ++n;
                ++i;
            }
            inWord = true;
            if (i < line.size() && line[i] == '"') {
                word.append(n / 2, '\\');
                if (n % 2 == 1) {
                    word += '"';
                    ++i;
                }
            } else {
                word.append(n, '\\');
            }
            continue;
        }
        if (c == '"') {
            quoted = !quoted;
            inWord = true;
        } else if ((c == ' ' || c == '\t') && !quoted) {
            if (inWord) {
                words.push_back(std::move(word));
                word.clear();
                inWord = false;
            }
        } else {
            word += c;
            inWord = true;
        }
        ++i;
    }
    if (inWord) {
        words.push_back(std::move(word));
    }
    return words;
}

int startProgram(const std::string& file, const std::string& parameters, const std::string& directory) {
    if (file.empty()) {
        return host::SE_ERR_FNF;
    }
    struct stat info {};
    if (!directory.empty() && (stat(directory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))) {
        return host::SE_ERR_PNF;
    }
    std::vector<std::string> words = splitCommandLine(parameters);
    words.insert(words.begin(), file);
    std::vector<char*> argv;
    for (std::string& w : words) {
        argv.push_back(w.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0) {
        return host::SE_ERR_OOM;
    }
    int error = directory.empty() ? 0 : posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    pid_t pid = 0;
    if (error == 0) {
        bool search = file.find('/') == std::string::npos;
        error = search ? posix_spawnp(&pid, file.c_str(), &actions, nullptr, argv.data(), environ)
                       : posix_spawn(&pid, file.c_str(), &actions, nullptr, argv.data(), environ);
    }
    posix_spawn_file_actions_destroy(&actions);
    switch (error) {
        case 0:
            return 42;
        case ENOENT:
            return host::SE_ERR_FNF;
        case ENOTDIR:
            return host::SE_ERR_PNF;
        case EACCES:
        case EPERM:
            return host::SE_ERR_ACCESSDENIED;
        case ENOMEM:
            return host::SE_ERR_OOM;
        default:
            return host::SE_ERR_NOASSOC;
    }
}

}  // namespace scene
