find_package(ZLIB REQUIRED)
zentrak_fuzz(png SOURCES png_fuzz.cpp LINK zentrak::am ZLIB::ZLIB CHANGES 3000)
