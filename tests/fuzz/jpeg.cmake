zentrak_fuzz(jpeg SOURCES jpeg_fuzz.cpp LINK zentrak::am CHANGES 3000)
