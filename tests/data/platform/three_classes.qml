<?xml version="1.0"?>
<!DOCTYPE qgis PUBLIC 'http://mrcc.com/qgis.dtd' 'SYSTEM'>
<qgis version="3.22.16" styleCategories="Symbology">
 <renderer-v2 type="graduatedSymbol" attr="pctIS">
  <ranges>
   <range symbol="0" lower="0" upper="9.99" label="&lt; 10%" render="true" />
   <range symbol="1" lower="9.99" upper="25" label="10% - 25%" render="true" />
   <range symbol="2" lower="25" upper="100" label="> 25%" render="true" />
  </ranges>
  <symbols>
   <symbol name="0" type="fill">
    <layer class="SimpleFill">
     <prop k="color" v="170,255,0,255" />
    </layer>
   </symbol>
   <symbol name="1" type="fill">
    <layer class="SimpleFill">
     <prop k="color" v="255,255,190,255" />
    </layer>
   </symbol>
   <symbol name="2" type="fill">
    <layer class="SimpleFill">
     <prop k="color" v="255,0,0,255" />
    </layer>
   </symbol>
  </symbols>
 </renderer-v2>
</qgis>
