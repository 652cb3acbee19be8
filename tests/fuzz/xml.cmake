zentrak_fuzz(xml SOURCES xml_fuzz.cpp LINK zentrak::xml CHANGES 5000)
