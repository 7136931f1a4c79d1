namespace ravik {}
