# The library comes with neither a CMake package nor a pkg-config file.
find_path(ZXCVBN_INCLUDE_DIR zxcvbn.h REQUIRED)
find_library(ZXCVBN_LIBRARY zxcvbn REQUIRED)
add_library(Zxcvbn::Zxcvbn SHARED IMPORTED GLOBAL)
set_target_properties(Zxcvbn::Zxcvbn PROPERTIES
    IMPORTED_LOCATION "${ZXCVBN_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${ZXCVBN_INCLUDE_DIR}")
