# The entity list of a bill of materials, as BillOfMaterialsTemplate() describes it.
BEGIN { FS = ";"; printf "<TN_FILEPARSER_ENTITIES>" }

NF >= 8 && $1 ~ /^[-+]?[0-9]+$/ && $2 ~ /^[-+]?[0-9]+$/ && $3 ~ /^([A-Za-z0-9]+,?[ \t]*)+$/ {
  printf "<ENTITY>Part"
  count = split($3, designators, /,?[ \t]*/)
  for (i = 1; i <= count; i++) printf "<REF_DESIGNATOR>%s</REF_DESIGNATOR>", designators[i]
  description = $8
  for (i = 9; i <= NF; i++) description = description ";" $i
  printf "<PART_NUMBER>%s</PART_NUMBER><PART_ID>item %s</PART_ID><PART_TYPE>%s</PART_TYPE>" \
         "<PACKAGE>%s</PACKAGE><VALUE>%s</VALUE><DESCRIPTION>%s</DESCRIPTION></ENTITY>",
         $4, $1, $5, $6, $7, description
}

END { printf "</TN_FILEPARSER_ENTITIES>" }
