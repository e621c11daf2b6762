# Flags shared by every target of the library itself.
function(e3d_library_flags target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_compile_definitions(${target} PRIVATE E3D_BUILDING=1)
  target_compile_options(${target} PRIVATE ${E3D_WARNINGS}
    -fno-exceptions -fno-rtti -fvisibility=hidden -fvisibility-inlines-hidden
    -fno-threadsafe-statics)
endfunction()
