# zucom_folder(name sources...) compiles one folder of the library. Includes start at the root of the project.

function(zucom_folder name)
  add_library(zucom_${name} OBJECT ${ARGN})
  target_include_directories(zucom_${name} PUBLIC "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  target_link_libraries(zucom_${name} PRIVATE zucom_flags)
  set_target_properties(zucom_${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
