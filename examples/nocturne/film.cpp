// zentrak-film with the effects of the nocturne.

#include "effects.h"
#include "zentrak_film.h"

int main(int argc, char** argv) {
    return zentrak::film::run(argc, argv, [](zentrak::kindler::Kindler& kindler) {
        return std::make_shared<nocturne::Effects>(kindler);
    });
}
