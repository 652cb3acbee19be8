if(ZENTRAK_TOOLS)
    zentrak_fuzz(o3d SOURCES o3d_fuzz.cpp LINK zentrak_scene_tools zentrak::o3d CHANGES 2000)
endif()
