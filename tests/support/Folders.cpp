#include "tests/support/Folders.h"

namespace support {

std::filesystem::path PluginFile() { return ZEM_PLUGIN_PATH; }

std::filesystem::path SamplesFolder() { return ZEM_SAMPLES_DIR; }

std::filesystem::path DocumentsFolder() { return ZEM_DOCUMENTS_DIR; }

std::filesystem::path SharedFolder() { return ZEM_SHARED_DIR; }

}  // namespace support
