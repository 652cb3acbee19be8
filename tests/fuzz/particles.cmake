zentrak_fuzz(particles SOURCES particles_fuzz.cpp LINK zentrak::sparks zentrak::xml zentrak::system CHANGES 300)
