#include "volumes/QTMovieAttributes.h"

namespace qrx {

QTMovieAttributes attributesOfMovie(const MovieDescription& movie) {
    QTMovieAttributes attributes;
    if (movie.naturalWidth > 0 && movie.naturalHeight > 0) {
        attributes.naturalSize = MovieSize{movie.naturalWidth, movie.naturalHeight};
    }
    attributes.modificationTime = movie.modificationTime;
    attributes.displayName = movie.displayName;
    attributes.creationTime = movie.creationTime;
    return attributes;
}

}  // namespace qrx
