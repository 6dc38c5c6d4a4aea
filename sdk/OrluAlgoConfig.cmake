# Defines the target OrluAlgo::OrluAlgo: the interface that an algorithm library implements. Sets
# OrluAlgo_KIT_DIR to the conformance kit's folder, which has one program for each pair of processor type
# and C++ library.
get_filename_component(OrluAlgo_PREFIX "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
set(OrluAlgo_KIT_DIR "${OrluAlgo_PREFIX}/kit")
if(NOT TARGET OrluAlgo::OrluAlgo)
  include(CMakeFindDependencyMacro)
  find_dependency(Threads)
  add_library(OrluAlgo::OrluAlgo INTERFACE IMPORTED)
  set_target_properties(OrluAlgo::OrluAlgo PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${OrluAlgo_PREFIX}/include"
    INTERFACE_COMPILE_FEATURES cxx_std_17
    INTERFACE_LINK_LIBRARIES Threads::Threads)
endif()
