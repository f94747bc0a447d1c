// Numbers of the resources; read by the resource compiler too.
#define kIcon 1
#define kManifest 1
#define kExampleTable 1
#define kFilterDialog 1
#define kFilterText 100
