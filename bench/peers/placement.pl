# The entity list of a placement list, as PlacementTemplate() describes it.
use strict;
use warnings;

my $decimal = qr/[-+]?(?:[0-9]+[.,][0-9]*|[.,][0-9]+)/;
my $units = '';
print '<TN_FILEPARSER_ENTITIES>';
while (my $line = <>) {
    if ($line =~ /^[ \t]*+([A-Za-z0-9]++)[ \t]++(TOP|BOTTOM)[ \t]++($decimal)[ \t]++($decimal)[ \t]++([-+]?[0-9]++)
                  [ \t]++([^ \t\n]++)[ \t]++([^ \t\n]++)[ \t]++([^ \t\n]++)[ \t]*+\n/xa) {
        print "<ENTITY>Part<REF_DESIGNATOR>$1</REF_DESIGNATOR><SIDEDNESS>$2</SIDEDNESS>",
              "<X_LOCATION>$3</X_LOCATION><Y_LOCATION>$4</Y_LOCATION><ROTATION>$5</ROTATION>",
              "<PACKAGE>$6</PACKAGE><PART_NUMBER>$7</PART_NUMBER><VALUE>$8</VALUE><UNITS>$units</UNITS></ENTITY>";
    } elsif ($units eq '' && $line =~ /^Units[ \t]*=[ \t]*([A-Za-z]+)$/) {
        $units = $1;
    }
}
print '</TN_FILEPARSER_ENTITIES>';
