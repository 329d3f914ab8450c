# The library comes with a pkg-config file alone.
find_path(ENCHANT_INCLUDE_DIR enchant-2/enchant.h REQUIRED)
find_library(ENCHANT_LIBRARY enchant-2 REQUIRED)
add_library(Enchant-2::Enchant SHARED IMPORTED GLOBAL)
set_target_properties(Enchant-2::Enchant PROPERTIES
    IMPORTED_LOCATION "${ENCHANT_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${ENCHANT_INCLUDE_DIR}")
