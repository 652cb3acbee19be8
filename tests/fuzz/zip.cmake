zentrak_fuzz(zip SOURCES zip_fuzz.cpp LINK zentrak::am CHANGES 3000)
