zentrak_fuzz(layout SOURCES layout_fuzz.cpp LINK zentrak::panorama zentrak::xml zentrak::system CHANGES 8000)
