# The entity list of a placement list, as PlacementTemplate() describes it.
BEGIN { printf "<TN_FILEPARSER_ENTITIES>" }

units == "" && /^Units[ \t]*=/ { sub(/^Units[ \t]*=[ \t]*/, ""); units = $0; next }

NF == 8 && $1 ~ /^[A-Za-z0-9]+$/ && ($2 == "TOP" || $2 == "BOTTOM") \
    && $3 ~ /^[-+]?([0-9]+[.,][0-9]*|[.,][0-9]+)$/ && $4 ~ /^[-+]?([0-9]+[.,][0-9]*|[.,][0-9]+)$/ \
    && $5 ~ /^[-+]?[0-9]+$/ {
  printf "<ENTITY>Part<REF_DESIGNATOR>%s</REF_DESIGNATOR><SIDEDNESS>%s</SIDEDNESS>" \
         "<X_LOCATION>%s</X_LOCATION><Y_LOCATION>%s</Y_LOCATION><ROTATION>%s</ROTATION>" \
         "<PACKAGE>%s</PACKAGE><PART_NUMBER>%s</PART_NUMBER><VALUE>%s</VALUE><UNITS>%s</UNITS></ENTITY>",
         $1, $2, $3, $4, $5, $6, $7, $8, units
}

END { printf "</TN_FILEPARSER_ENTITIES>" }
