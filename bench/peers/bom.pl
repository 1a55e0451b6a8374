# The entity list of a bill of materials, as BillOfMaterialsTemplate() describes it.
use strict;
use warnings;

print '<TN_FILEPARSER_ENTITIES>';
while (my $line = <>) {
    next unless $line =~ /^([-+]?[0-9]++);[-+]?[0-9]++;((?:[A-Za-z0-9]++,?[ \t]*+)++);
                          ([^;]*+);([^;]*+);([^;]*+);([^;]*+);(.*+)\n/xa;
    my ($item, $designators, $article, $maker, $package, $value, $description) = ($1, $2, $3, $4, $5, $6, $7);
    print '<ENTITY>Part';
    print "<REF_DESIGNATOR>$1</REF_DESIGNATOR>" while $designators =~ /([A-Za-z0-9]+)/g;
    print "<PART_NUMBER>$article</PART_NUMBER><PART_ID>item $item</PART_ID><PART_TYPE>$maker</PART_TYPE>",
          "<PACKAGE>$package</PACKAGE><VALUE>$value</VALUE><DESCRIPTION>$description</DESCRIPTION></ENTITY>";
}
print '</TN_FILEPARSER_ENTITIES>';
